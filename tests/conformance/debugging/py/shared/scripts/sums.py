def add(list):
    total = 0
    for each in list:  # @head
        total += each["price"]  # @body
    return total  # @return


def twice(number):
    return number * 2  # @twice
