"""The line protocol: one JSON object per line, commands in on descriptor 0, events out on a private descriptor."""
