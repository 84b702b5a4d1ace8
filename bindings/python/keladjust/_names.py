"""The name that was meant."""


def _distance(wrong, name):
    """Letters to insert, delete or replace: Wagner and Fischer's table, one row at a time."""
    row = list(range(len(name) + 1))
    for i, letter in enumerate(wrong, 1):
        diagonal, row[0] = row[0], i
        for j, other in enumerate(name, 1):
            diagonal, row[j] = row[j], min(row[j] + 1, row[j - 1] + 1,
                                           diagonal + (letter != other))
    return row[-1]


def suggestion(wrong, names):
    """"; did you mean X?" for messages, empty if no name is near enough to be what was meant.

    The command-line program draws the same line."""
    wrong = wrong[:100]  # no name is as long, and the table grows with both
    near = min(names, key=lambda name: _distance(wrong, name))
    return f"; did you mean {near}?" if _distance(wrong, near) <= max(2, len(wrong) // 3) else ""
