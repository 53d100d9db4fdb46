// The names of the calculator's objects. Scripts import them; add() writes new ones below.
export const window = {type: "Calculator"};
export const display = {type: "QLineEdit", window};

// Buttons

export const button = text => ({type: "Button", text, window});
export const equalsButton = button("=");
export const clearAllButton = button("Clear All");
