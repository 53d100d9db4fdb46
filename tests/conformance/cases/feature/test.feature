Feature: Orders
  Background:
    Given an empty order

  Scenario: Parameters
    When 2 pies for "Ann" are ordered
    Then 2 pies arrive
    And it costs 4.50

  Scenario: A table
    When these are ordered
      | kind  | count |
      | apple | 2     |
      | plum  | 3     |
    Then 5 pies arrive

  Scenario: A doc string
    When the note says
      """
      two lines
      of text
      """
    Then the note has 2 lines

  Scenario: Wrong
    When 1 pie for "Bob" is ordered
    Then 2 pies arrive
    And an error is raised
    And this is not reached

  Scenario: Undefined
    When nobody knows this step
