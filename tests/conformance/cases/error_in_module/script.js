import {call} from "error_in_module_helper";

export function main() {
    call(fail);  // @main
}

function fail() {
    throw new RangeError("called back");  // @fail
}
