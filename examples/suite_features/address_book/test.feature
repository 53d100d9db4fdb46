Feature: Address book
  Entries are filled in with a dialog. Its steps are beside this file, in steps/.

  Scenario: Entries stand under their letters
    Given an empty address book
    When these people are entered:
      | name  | address                          |
      | Ada   | 12 St James's Square, London     |
      | Grace | Arlington                        |
    Then the tab ABC lists Ada
    And Ada lives here:
      """
      12 St James's Square, London
      """
