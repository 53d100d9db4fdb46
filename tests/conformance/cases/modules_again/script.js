import {count} from "modules_helper";

export function main() {
    test.compare(count(), 0);  // @count
}
