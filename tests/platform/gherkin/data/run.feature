@shop
Feature: orders
  As a customer
  I order

  Background:
    Given a customer

  @untagged @quick
  Scenario: right
    Some words.
    When all is well
      | a | b |
      | 1 | 2 |
    Then the text is
      """ text/x
      two
      lines
      """

  Scenario: stops at the first failure
    When this fails
    Then this comes later

  Scenario: without steps

  Scenario Outline: <count> <what>
    When <count> <what> are ordered by <who> at <1 < 2 <what>
      | <what>s |
    Then the text is
      """ <type>
      <count><count>
      """

    @first @slow
    Examples: first
      | count | what | type |
      | 1     | pie  | x/y  |
      | 2     | fails | <what> |

    Examples: without a table

    Examples: second
      | what |
      | cake |

  @rule
  Rule: payment
    Background:
      Given an account

    @slow
    Scenario: told apart
      * unknown

    Scenario: ambiguous
      * twice

    Scenario: verification
      * verifies wrongly
      * this comes later

    Scenario: hooks fail @nosuchtag
      * hooks fail

  Rule: empty
