Feature: Lights
  @special
  Scenario: Special
    Given a red light

  Scenario: Plain
    Given a green light

  Scenario: Later
    Given something to do
