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

# What a handler of an event has raised, such as a script of `after`. A script may see to that itself,
# as Tcl's scripts do.
proc ::tamrix::lateError {message options} {
    if {[llength [info commands ::bgerror]]} {
        return [::tcl::Bgerror $message $options]
    }
    ::tamrix::_takeLateError $message $options
}
interp bgerror {} ::tamrix::lateError

# Scripts find modules and packages in a folder, before those that were added earlier.
proc ::tamrix::addFolder {path} {
    set ::auto_path [linsert $::auto_path 0 $path]
    # A folder in one that is there already need not be added.
    catch {::tcl::tm::path add $path}
}

# A script begins.
proc ::tamrix::start {path arguments} {
    set ::argv0 $path
    # Also of the procedures that run once the file was read.
    info script $path
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

# The rows of a step's table below its first one, as dictionaries. The first row and all rows are
# `headers` and `raw` of the context.
proc ::tamrix::rowsOf {table} {
    ::tamrix::_set {} headers [lindex $table 0]
    ::tamrix::_set {} raw $table
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

# What steps and hooks keep for each other: `context get name` and its like.
namespace eval ::bdd::context {
    namespace export get set unset exists names
    namespace ensemble create -prefixes 0
}
proc ::bdd::context::get {name} {
    ::set found [::tamrix::_find {} $name]
    if {![llength $found]} {
        return -code error -errorcode {TAMRIX MEMBER} "The context has no value \"$name\""
    }
    return [lindex $found 0]
}
proc ::bdd::context::set {name value} {
    return [::tamrix::_set {} $name $value]
}
proc ::bdd::context::unset {name} {
    if {![::tamrix::_remove {} $name]} {
        return -code error -errorcode {TAMRIX MEMBER} "The context has no value \"$name\""
    }
}
proc ::bdd::context::exists {name} {
    return [expr {[llength [::tamrix::_find {} $name]] > 0}]
}
proc ::bdd::context::names {} {
    return [dict keys [::tamrix::_all {}]]
}

# Turns what a pattern has taken into a value.
proc ::bdd::parameter_type {name pattern {transformer {}}} {
    ::tamrix::_addType {} $name [list $pattern] $transformer
}

# A step is still to be written.
proc ::bdd::pending {{reason "the step definition is to be written"}} {
    return -code error -errorcode {TAMRIX PENDING} $reason
}
