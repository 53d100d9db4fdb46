throw new RangeError("in the file");
