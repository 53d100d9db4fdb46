# Drives the same scene in a program with Qt 5 and in one with Qt 6, side by side. Nobody has to say
# which is which.

proc main {} {
    set programs [list [startApplication scene] [startApplication scene6]]
    foreach program $programs {
        setApplicationContext $program
        test log "Greeting in [$program toolkitVersion]"
        fill {name who} Ada
        click {name greet}
        test expect {name greeting} {text {Hello, Ada}} -comment [$program toolkitVersion]
    }
}
