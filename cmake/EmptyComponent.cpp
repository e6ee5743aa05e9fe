// Translation unit of a concern that has only headers.
