function main() {
    const path = findFile("testdata", "find_file_data.tsv");
    test.compare(path.split("/").pop(), "find_file_data.tsv");  // @name
    try {
        findFile("testdata", "no_such_file.tsv");
    } catch (error) {
        if (error instanceof tamrix.Error)
            test.log("refused");  // @refused
    }
}
