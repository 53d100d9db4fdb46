# Mode: run
# Break points hold in modules that are imported later.
def main():
    import library

    library.useLibrary()
    return [library.Library().use() for _ in range(2)]
