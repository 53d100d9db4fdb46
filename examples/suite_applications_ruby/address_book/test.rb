# Fills in a dialog that a menu opens, and looks at the table that it fills.

def add(name, address)
  selectItem("{type='QMenuBar'}", 'Tools.Add Entry\.\.\.')
  fill("{type='QLineEdit' window=':AddContact'}", name)
  fill("{type='QTextEdit' window=':AddContact'}", address)
  click("{type='QPushButton' text='OK' window=':AddContact'}")
end

def section(title)
  test.startSection(title)
  yield
  test.endSection
end

def main
  startApplication('addressbook')

  add('Ada', "12 St James's Square, London")
  add('Grace', 'Arlington')

  section('The tables hold what is expected') do
    selectItem("{type='QTabBar'}", 'GHI')
    test.vp('grace.vp')
  end

  section('The tab ABC has Ada alone') do
    selectItem("{type='QTabBar'}", 'ABC')
    table = waitForObject("{type='QTableView' visible='true'}")
    test.compare(waitForObjectItem(table, 0, 0).text, 'Ada')
    test.compare(waitForObjectItem(table, 0, 1).text, "12 St James's Square, London")
    test.verify(!object.exists("{text='Grace' container={type='QTableView' visible='true'}}"))
  end

  section('A selected entry can be removed') do
    remove = "{type='QAction' text='Remove Entry'}"
    test.expect(remove, { enabled: false }, comment: 'nothing is selected yet')
    selectItem("{type='QTableView' visible='true'}", 'Ada')
    test.expect(remove, { enabled: true }, comment: 'Ada is selected')
    selectItem("{type='QMenuBar'}", 'Tools.Remove Entry')
    test.verify(waitFor(5000) { !object.exists("{text='Ada'}") }, 'Ada is gone')
  end
end
