// Keeps the codec archive non-empty while it is being written.
