def main():
    import broken
