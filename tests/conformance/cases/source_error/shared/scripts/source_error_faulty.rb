raise ArgumentError, 'in the file'
