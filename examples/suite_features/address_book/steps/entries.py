from bdd import given, parameter_type, then, when


@parameter_type("person", "Ada|Grace")
def person(name):
    return name


@given("an empty address book")
def open_address_book(context):
    startApplication("addressbook")


@when("these people are entered:")
def enter(context):
    for row in context.table:
        selectItem("{type='QMenuBar'}", r"Tools.Add Entry\.\.\.")
        fill("{type='QLineEdit' window=':AddContact'}", row["name"])
        fill("{type='QTextEdit' window=':AddContact'}", row["address"])
        click("{type='QPushButton' text='OK' window=':AddContact'}")


@then("the tab {word} lists {person}")
def look_at_tab(context, tab, name):
    selectItem("{type='QTabBar'}", tab)
    context.table_view = waitForObject("{type='QTableView' visible='true'}")
    test.compare(waitForObjectItem(context.table_view, 0, 0).text, name)


@then("{person} lives here:")
def look_at_address(context, name):
    test.compare(waitForObjectItem(context.table_view, 0, 1).text, context.text)
