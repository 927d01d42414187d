"""What the sessions of docs/writing-a-client.md show is what happens; its commands are tried with those
of the other documents."""

import doctest
import os
import unittest
from pathlib import Path

ROOT = Path(__file__).parents[2]
GUIDE = ROOT / "docs/writing-a-client.md"


class Documents(unittest.TestCase):
    def test_the_sessions_of_the_guide(self):
        os.chdir(ROOT)
        failed, tried = doctest.testfile(str(GUIDE), module_relative=False)
        self.assertEqual(failed, 0)
        self.assertGreater(tried, 15)


if __name__ == "__main__":
    unittest.main()
