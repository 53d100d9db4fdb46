# The names of the calculator's objects. Scripts require them; add() writes new ones below.
module Names
  WINDOW = { type: 'Calculator' }
  DISPLAY = { type: 'QLineEdit', window: WINDOW }

  # Buttons

  def self.button(text) = { type: 'Button', text: text, window: WINDOW }

  EQUALS_BUTTON = button('=')
  CLEAR_ALL_BUTTON = button('Clear All')
end
