proc main {} {
    runFeatureFile [findFile testdata feature_script.feature] ;# @main
}
