error "in the file"
