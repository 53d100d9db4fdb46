# Types into a Qt Quick scene and clicks in it.

proc main {} {
    startApplication scene
    fill "{name='who' window={type='QQuickWindow'}}" Ada
    click {name greet}
    test expect {name greeting} {text {Hello, Ada} type QQuickText}
}
