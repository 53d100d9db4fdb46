"""The names of the calculator's objects. Scripts import them; add() writes new ones below."""

window = {"type": "Calculator"}
display = {"type": "QLineEdit", "window": window}

# Buttons

def button(text):
    return {"type": "Button", "text": text, "window": window}


equals_button = button("=")
clear_all_button = button("Clear All")
