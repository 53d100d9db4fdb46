# What the plug-in has in Tcl itself.

namespace eval ::tamrix {
    # Names of variables that are none of a script's.
    variable hidden {}
}

# In place of Tcl's own, which would end the run: the interpreter knows this code for the end.
proc ::exit {{returnCode 0}} {
    if {![string is integer -strict $returnCode]} {
        return -code error "expected integer but got \"$returnCode\""
    }
    return -code 1002 [expr {$returnCode}]
}

# Scripts find modules and packages in a folder, before those that were added earlier.
proc ::tamrix::addFolder {path} {
    set ::auto_path [linsert $::auto_path 0 $path]
    # A folder in one that is there already need not be added.
    catch {::tcl::tm::path add $path}
}

# A script begins.
proc ::tamrix::start {path arguments} {
    set ::argv0 $path
    set ::argv $arguments
    set ::argc [llength $arguments]
    set ::tamrix::hidden [uplevel #0 {info globals}]
}

# The variables at a level, as `uplevel` counts them, each with its value; an array is a dictionary.
proc ::tamrix::variables {level} {
    set found {}
    foreach name [lsort [uplevel #$level [expr {$level == 0 ? "info globals" : "info vars"}]]] {
        if {$name in $::tamrix::hidden} continue
        upvar #$level $name variable
        if {![array exists variable]} {
            # One that has no value yet is none.
            if {[info exists variable]} {
                lappend found $name $variable
            }
        } elseif {[array size variable] > 0} {
            lappend found $name [dict create {*}[array get variable]]
        }
    }
    return $found
}

# Code that a person writes at a stop. An expression begins with a variable, a number or what can't
# begin a command; everything else is a command, or the name of a variable.
proc ::tamrix::evaluate {level code} {
    if {[regexp {^[][$(!"~0-9-]} $code]} {
        return [uplevel #$level [list expr $code]]
    }
    if {![regexp {\s} $code] && [uplevel #$level [list info exists $code]]} {
        return [uplevel #$level [list set $code]]
    }
    return [uplevel #$level $code]
}

# The rows of a table below its first one, as dictionaries.
proc ::tamrix::rowsOf {table} {
    set rows {}
    foreach cells [lrange $table 1 end] {
        set row [dict create]
        foreach name [lindex $table 0] cell $cells {
            dict set row $name $cell
        }
        lappend rows $row
    }
    return $rows
}

# A step is still to be written.
proc ::bdd::pending {{reason "the step definition is to be written"}} {
    return -code error -errorcode {TAMRIX PENDING} $reason
}
