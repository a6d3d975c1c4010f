"""How far readings are from true texts, measured as the recognition benchmark does, for any recogniser."""

import numpy


def normalised(text):
    """Lines without what recognisers differ in and nobody misses: empty lines, space around a line."""
    return [line for line in (" ".join(line.split()) for line in text.splitlines()) if line]


def edit_distance(a, b):
    """Levenshtein's distance, a row of the matrix at a time."""
    if not a or not b:
        return max(len(a), len(b))
    other = numpy.array([ord(c) for c in b])
    ramp = numpy.arange(len(b) + 1)
    row = ramp.copy()
    for i, c in enumerate(a, 1):
        candidates = numpy.concatenate(([i], numpy.minimum(row[1:] + 1, row[:-1] + (other != ord(c)))))
        # Insertions: the best of everything to the left with one more error a step.
        row = numpy.minimum.accumulate(candidates - ramp) + ramp
    return int(row[-1])


def common_lines(a, b):
    """How many of a's lines b has exactly and in the same order."""
    row = [0] * (len(b) + 1)
    for line in a:
        diagonal = 0
        for j, other in enumerate(b, 1):
            above = row[j]
            row[j] = diagonal + 1 if line == other else max(above, row[j - 1])
            diagonal = above
    return row[-1]
