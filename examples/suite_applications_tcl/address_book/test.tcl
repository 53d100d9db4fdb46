# Fills in a dialog that a menu opens, and looks at the table that it fills.

proc add {name address} {
    selectItem {type QMenuBar} {Tools.Add Entry\.\.\.}
    fill {type QLineEdit window :AddContact} $name
    fill {type QTextEdit window :AddContact} $address
    click {type QPushButton text OK window :AddContact}
}

proc main {} {
    startApplication addressbook

    add "Ada" "12 St James's Square, London"
    add "Grace" "Arlington"

    test startSection "The tables hold what is expected"
    selectItem {type QTabBar} GHI
    test vp grace.vp
    test endSection

    test startSection "The tab ABC has Ada alone"
    selectItem {type QTabBar} ABC
    set table [waitForObject {type QTableView visible true}]
    test compare [[waitForObjectItem $table 0 0] text] "Ada"
    test compare [[waitForObjectItem $table 0 1] text] "12 St James's Square, London"
    set grace "{text='Grace' container={type='QTableView' visible='true'}}"
    test verify [expr {![object exists $grace]}]
    test endSection

    test startSection "A selected entry can be removed"
    set remove {type QAction text {Remove Entry}}
    test expect $remove {enabled false} -comment "nothing is selected yet"
    selectItem $table Ada
    test expect $remove {enabled true} -comment "Ada is selected"
    selectItem {type QMenuBar} "Tools.Remove Entry"
    test verify [waitFor {![object exists {text Ada}]} 5000] "Ada is gone"
    test endSection
}
