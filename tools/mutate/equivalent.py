"""The changes that are known to change nothing, with the reason of each."""


class Equivalent:
    """Read from blocks of lines with an empty line between them: the file, "- " and the line, "+ "
    and what it becomes, and the reason. Numbers of lines would not last."""

    def __init__(self, name):
        self.known = set()
        with open(name, encoding='utf-8') as file:
            text = ''.join(line for line in file if not line.startswith('#'))
        for block in text.split('\n\n'):
            lines = block.strip().split('\n')
            if lines != ['']:
                self._add(name, lines)

    def _add(self, name, lines):
        if len(lines) < 4 or lines[1][:2] != '- ' or lines[2][:2] != '+ ':
            raise SystemExit('%s: not a file, a line, what it becomes and why:\n%s' %
                             (name, '\n'.join(lines)))
        changed, old, new = lines[0], lines[1][2:], lines[2][2:]
        with open(changed, encoding='utf-8') as file:
            if old not in (line.strip() for line in file):
                raise SystemExit('%s: %s has no such line any more:\n%s' % (name, changed, old))
        self.known.add((changed, old, new))

    def __contains__(self, change):
        return (change.file, change.old.strip(), change.new.strip()) in self.known
