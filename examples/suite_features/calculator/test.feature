@calculator
Feature: Sums
  A person types sums with the buttons of the calculator and reads its display.
  This case has no script: the steps are in shared/steps.

  Background:
    Given the calculator

  @quick
  Scenario: Adding
    When I type "7 + 5 ="
    Then the display shows 12

  Scenario: Clearing
    When I type "4 2"
    And I type "Clear"
    Then the display shows 0

  Scenario Outline: Four operations
    When I type "<left> <operation> <right> ="
    Then the display shows <result>

    Examples:
      | left | operation | right | result |
      | 6    | +         | 3     | 9      |
      | 6    | -         | 3     | 3      |
      | 6    | ×         | 3     | 18     |
      | 6    | ÷         | 3     | 2      |

  Rule: The memory outlives a cleared display

    Scenario: Storing and recalling
      When I type these keys:
        | key       |
        | 8         |
        | MS        |
        | Clear All |
        | MR        |
      Then the display shows 8
