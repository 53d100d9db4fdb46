"""Is run by source() or imported; break points are set by its bare name before it is loaded."""
names = ["a"]


class Library:
    count = 1  # break

    def use(self):
        return self.count  # break


def useLibrary():
    return Library().use()


upper = [name.upper() for name in names]  # break
