proc main {} {
    startApplication widgets
    set tabs [waitForObject "{type='QTabWidget'}"]
    selectItem {type QTabBar} Views
    test compare [$tabs currentIndex] 1 ;# @views
    selectItem {type QTabBar} Form
    test compare [$tabs currentIndex] 0 ;# @form
}
