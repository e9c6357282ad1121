// Nothing: a target needs a source.
