"""What docs/writing-a-client.md shows is what happens."""

import doctest
import os
import re
import subprocess
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

    def test_the_commands_of_the_guide(self):
        commands = re.findall(r"^\$ (?!export )(.*)$", GUIDE.read_text(encoding="utf-8"), re.M)
        self.assertTrue(commands)
        for command in commands:
            with self.subTest(command):
                subprocess.run(["bash", "-c", command], cwd=ROOT, check=True, capture_output=True)


if __name__ == "__main__":
    unittest.main()
