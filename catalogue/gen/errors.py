"""Source errors carry the place they were found so a catalogue author can jump to it."""


class SourceError(Exception):
    def __init__(self, path, line, message):
        super().__init__(f"{path}:{line}: {message}")
        self.path = path
        self.line = line
        self.message = message
