Feature: errors

  text is allowed here

  Scenario: one
    Given a step
    more text
    | a | b |
    | a |
    | a | b | c |
    Examples with a colon missing
    """
    text
    """
    Feature: again

  @tag with spaces @good
  Background: tags can't stand before it
  Then what

  @dangling
