import {check, count} from "modules_helper";

export function main() {
    check(7);  // @main
    test.compare(count(), 1);  // @count
}
