Feature: orders
  Scenario: pies
    Given 2 pies
    When they are eaten
    When they are eaten
