"""What changes are made to a line, and to which lines none."""
import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from changes import changes_of_line


def changes(line, before=';'):
    return set(changes_of_line(line, before))


class Changes(unittest.TestCase):
    def test_a_comparison_becomes_its_neighbours(self):
        self.assertEqual(changes('return a <= b;'),
                         {'return a < b;', 'return a > b;', 'return !(a <= b);'})

    def test_an_equality_is_reversed_once(self):
        self.assertEqual(changes('if (a == b) {'), {'if (a != b) {'})

    def test_a_number_becomes_its_neighbours(self):
        self.assertEqual(changes('int a = 16u;'), {'int a = 17u;', 'int a = 15u;'})
        self.assertEqual(changes('int a = 0;'), {'int a = 1;', 'int a = (-1);'})
        self.assertEqual(changes('int a = 0010;'), {'int a = 9;', 'int a = 7;'})

    def test_a_call_and_an_assignment_go(self):
        self.assertIn('    ;', changes('    Send(packet);'))
        self.assertIn(';', changes('count = other;'))
        self.assertIn(';', changes('const Lock lock(mutex);'))

    def test_what_something_else_needs_stays(self):
        for line in ('return a;', 'int a(b);', 'unsigned int count;', 'std::string text(other);'):
            self.assertEqual(changes(line), set(), line)

    def test_a_part_of_a_statement_stays(self):
        self.assertEqual(changes('    second);', 'Call(first,'), set())

    def test_a_flag_goes(self):
        self.assertIn('open(path, O_RDONLY)', changes('open(path, O_RDONLY | O_CLOEXEC)'))

    def test_a_choice_is_turned_round(self):
        self.assertIn('a = b ? d : c;', changes('a = b ? c : d;'))

    def test_a_text_is_longer_or_empty(self):
        self.assertEqual(changes('Say("a < b", c)'), {'Say("a < bq", c)', 'Say("", c)'})

    def test_comments_and_what_is_no_statement_stay(self):
        for line in ('// a < b 1', '#include <a>', '}', 'namespace a {', 'using A = B<1>;', ''):
            self.assertEqual(changes(line), set(), line)
        self.assertEqual(changes('f(a);  // 1 < 2'), {';'})


unittest.main()
