# The names of the calculator's objects. Scripts source them; add writes new ones below.
namespace eval names {}
set names::window {type Calculator}
set names::display [dict create type QLineEdit window $names::window]

# Buttons

proc names::button {text} {
    return [dict create type Button text $text window $names::window]
}
set names::equals_button [names::button =]
set names::clear_all_button [names::button {Clear All}]
