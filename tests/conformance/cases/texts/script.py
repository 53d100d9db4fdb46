def main():
    test.log("\u00e4\u00f6\u00fc \u20ac \u4e2d\u6587")  # @plane
    test.log("\U0001f600 and \U0010ffff")  # @beyond
    test.log("a tab\tand a\nnew line")  # @control
    test.log("a NUL\0in it")  # @nul
    test.log("\ufeffmark")  # @mark
    test.log("")  # @empty
