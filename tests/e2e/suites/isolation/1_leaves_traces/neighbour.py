"""Found beside the script of this test case only."""
