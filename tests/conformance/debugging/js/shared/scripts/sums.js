export function add(list) {
    let total = 0;
    for (const each of list)  // @head
        total += each.price;  // @body
    return total;  // @return
}

export function twice(number) {
    return number * 2;  // @twice
}
