// being written
