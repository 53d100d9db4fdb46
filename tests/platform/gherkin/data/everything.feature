# A comment above all.
@shop @slow  # with a comment
@web
Feature: Orders
  As a customer I order things.
  # A comment inside the description.

    Also an indented line.


  Background: a customer
    Given a customer

  # A comment between.
  @one@two
  Scenario: a step of each kind
    The description, in which
    Scenario words without a colon are text.
    Given a cart
    When the customer orders
    Then there is an order
    And it is paid
    But it is not sent
    * nothing else happens

  Scenario: arguments of steps
    Given a table
      | name | price |  note      |
      | ap\|ple | 1 | two\nlines |

      # A comment in a table.
      | \\n | \x |              |
    And a doc string
      """ application/json
      {
        "text": "an \"\"\" inside"
     less
          more

      ``` is text
      """
    And another fence
    ```
    it's """ here
    ```
    And both
      | a |
      """
      text
      """
    And both in the other order
      """
      """
      | a |
    And 日本語 in cells
      | 東京 | 😀 | é |

  Scenario Outline: <count> things
    Given <count> things

    @few
    Examples: few
      With a description.
      | count |
      | 1     |
      | 2     |

    @many
    Scenarios:
      | count |

    Examples: without a table

  Rule: discounts
    Background:
      Given a discount

    Example: inside a rule
      Given an order

  @late
  Rule: an empty one

  Rule: the last
    Scenario: without steps
