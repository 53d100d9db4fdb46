@shop
Feature: orders
  As a customer
  I order

  Background:
    Given a customer

  @untagged @quick
  Scenario: right
    When "2" pies are ordered
      | what | a \| b |
      | pie  | 2      |
    Then the text is
      """json
      {"two":
       2}
      """

  Scenario: stops at the first failure
    Some words.
    When this fails
    Then this comes later

  Scenario: undefined
    * unknown

  Scenario: ambiguous
    * twice

  Scenario: cannot be handed over
    * wrong arguments

  Scenario: pending
    * to be written

  Scenario: a hook fails
    * nothing

  Scenario Outline: buy <what>
    When <count> <what>
    Examples:
      | count | what | who |
      | 1     | pie  | ann |
      | 2     | cake | bob |
