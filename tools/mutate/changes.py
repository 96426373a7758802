"""The single changes that can be made to a line of C++."""
import collections
import re

Change = collections.namedtuple('Change', 'file number old new')

STRING = re.compile(r'"(?:[^"\\]|\\.)*"')
CHARACTER = re.compile(r"'(?:[^'\\]|\\.)'")
NUMBER = re.compile(r'(?<![\w.\0])(0x[0-9A-Fa-f]+|\d+)([uUlL]*)(?![\w.])')

# Pairs of a pattern and what its only group becomes.
OPERATORS = [
    (re.compile(r'(?<=[\w\])*] )(==|!=|<=|>=|<|>)(?= )'),
     {'==': ['!='], '!=': ['=='], '<=': ['<', '>'], '>=': ['>', '<'], '<': ['<=', '>='],
      '>': ['>=', '<=']}),
    (re.compile(r'(&&|\|\|)'), {'&&': ['||'], '||': ['&&']}),
    (re.compile(r' ([-+*/%]) '), {'+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['/']}),
    (re.compile(r' (<<|>>|[&|^]) '),
     {'<<': ['>>'], '>>': ['<<'], '&': ['|'], '|': ['&'], '^': ['&']}),
    (re.compile(r' ([-+*/|&]=) '),
     {'+=': ['-='], '-=': ['+='], '*=': ['/='], '/=': ['*='], '|=': ['&='], '&=': ['|=']}),
    (re.compile(r'(\+\+|--)'), {'++': ['--'], '--': ['++']}),
    (re.compile(r'\b(true|false)\b'), {'true': ['false'], 'false': ['true']}),
]
FLAG = re.compile(r' \| [A-Z]+_\w+')
CONDITION = re.compile(r'\b(?:if|while) \(')
# Its negation is among the replaced operators.
ONE_COMPARISON = re.compile(r'[^=!<>&|]+ [=!]= [^=!<>&|]+')
CHOICE = re.compile(r' \? ([^?:]+) : ((?:[^(),;?:]|\([^()]*\))+)(?=[;,)])')
RETURN = re.compile(r'\breturn (.*(?:==|!=|&&|\|\|| < | > |<=|>=).*);$')

NOT_CODE = re.compile(r'#|[{};]*$|(namespace|class|struct|enum|union|public|private|protected|using|'
                      r'typedef|template|static_assert|friend|default:|extern)\b|[A-Z_]+\(.*\)$')
# An object that nobody names again is made for what its life does.
FOR_ITS_LIFE = re.compile(r'const [A-Z][\w:]* \w+(\(.*\))?;$')
DECLARATION = re.compile(r'(const|static|struct|volatile|explicit|virtual|std::\w+<.*>|'
                         r'(unsigned |long )*[\w:]+(<.*>)?[*&]*) [*&]*\w+( =|;|\(|\[|\{)')
JUMP = re.compile(r'(return|throw|goto|delete)\b')


def without_texts(line):
    """The line, as long, with blanks for what strings, characters and comments hold."""
    line = STRING.sub(lambda m: '"' + '\0' * (len(m.group()) - 2) + '"', line)
    line = CHARACTER.sub(lambda m: "'" + '\0' * (len(m.group()) - 2) + "'", line)
    comment = line.find('//')
    return line if comment < 0 else line[:comment].ljust(len(line), '\0')


def end_of_brackets(code, start):
    """Where the bracket that was opened before `start` is closed; -1 if not on this line."""
    depth = 1
    for i in range(start, len(code)):
        depth += {'(': 1, ')': -1}.get(code[i], 0)
        if depth == 0:
            return i
    return -1


def replaced_operators(line, code):
    for pattern, replacements in OPERATORS:
        for match in pattern.finditer(code):
            for new in replacements[match.group(1)]:
                yield line[:match.start(1)] + new + line[match.end(1):]
    for match in FLAG.finditer(code):
        yield line[:match.start()] + line[match.end():]


def replaced_constants(line, code):
    for match in NUMBER.finditer(code):
        digits, suffix = match.groups()
        isOctal = re.fullmatch('0[0-7]+', digits)
        value = int(digits, 8 if isOctal else 0)
        for new in (value + 1, value - 1):
            if new >= 0 or not suffix:
                text = '%d%s' % (new, suffix) if new >= 0 else '(-1)'
                yield line[:match.start()] + text + line[match.end():]
    for match in STRING.finditer(line):
        if len(match.group()) > 2 and code[match.start()] == '"':
            yield line[:match.end() - 1] + 'q' + line[match.end() - 1:]
            yield line[:match.start()] + '""' + line[match.end():]
    for match in CHARACTER.finditer(line):
        if code[match.start()] == "'":
            yield line[:match.start()] + ("'q'" if match.group() != "'q'" else "'r'") \
                + line[match.end():]


def replaced_conditions(line, code):
    for match in CONDITION.finditer(code):
        end = end_of_brackets(code, match.end())
        if end >= 0 and not ONE_COMPARISON.fullmatch(code[match.end():end]):
            yield line[:match.end()] + '!(' + line[match.end():end] + ')' + line[end:]
    for match in CHOICE.finditer(code):
        first, second = (line[match.start(i):match.end(i)] for i in (1, 2))
        yield line[:match.start()] + ' ? ' + second + ' : ' + first + line[match.end():]
    match = RETURN.search(code.rstrip('\0 '))
    if match and not ONE_COMPARISON.fullmatch(match.group(1)):
        yield line[:match.start(1)] + '!(' + line[match.start(1):match.end(1)] + ')' \
            + line[match.end(1):]


def removed_statement(line, code, before):
    """A call, an assignment or a jump, if the line has all of it."""
    text = code.strip('\0 ')
    isWhole = text.endswith(';') and (not before or before[-1] in ';{}:')
    if not isWhole or text.count('(') != text.count(')') or text.count('{') != text.count('}'):
        return
    isKept = JUMP.match(text) and text != 'return;' or DECLARATION.match(text)
    if not isKept or FOR_ITS_LIFE.match(text):
        yield line[:len(line) - len(line.lstrip())] + ';'


def changes_of_line(line, before):
    """Every other text that the line may get; `before` is the code of the line before it."""
    code = without_texts(line)
    if NOT_CODE.match(code.strip('\0 ')):
        return []
    found = [*replaced_operators(line, code), *replaced_constants(line, code),
             *replaced_conditions(line, code), *removed_statement(line, code, before)]
    return sorted({new for new in found if new != line})


def changes_of_file(name):
    before = ''
    with open(name, encoding='utf-8') as file:
        for number, line in enumerate(file.read().split('\n'), 1):
            for new in changes_of_line(line, before):
                yield Change(name, number, line, new)
            code = without_texts(line).strip('\0 ')
            if code and not code.startswith('#'):
                before = code
