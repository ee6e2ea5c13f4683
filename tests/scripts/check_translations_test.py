"""What scripts/check-translations finds wrong, shown with tables that were broken for it."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "scripts" / "check-translations"
sys.path.insert(0, str(SCRIPT.parent))
import po_file  # noqa: E402

loader = SourceFileLoader("check_translations", str(SCRIPT))
checks = module_from_spec(spec_from_loader(loader.name, loader))
loader.exec_module(checks)


class CheckTranslations(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()), "translations")
        shutil.copytree(ROOT / "resources" / "translations", self.folder)
        self.known_texts = {message.text
                            for message in po_file.read(self.folder / "tavrin.pot")[1:]}
        self.texts = set(self.known_texts)

    def rewrite(self, text, change, language="de"):
        """Changes the message of a text in the table of a language."""
        path = self.folder / f"{language}.po"
        messages = po_file.read(path)
        change(next(message for message in messages if message.text == text))
        po_file.write(path, messages)
        return path

    def faults(self, path):
        """What is found in a changed table and was not found before."""
        before = set(checks.table_faults(ROOT / "resources" / "translations" / path.name,
                                         self.known_texts))
        return "\n".join(fault for fault in checks.table_faults(path, self.texts)
                         if fault not in before)

    def test_a_translation_that_breaks_what_its_text_promises(self):
        access = next(text for text in self.texts if "%@" in text)
        for text, translation, fault, language in (
                ("Cancel", "", "not translated", "de"),
                ("The name will be %1.", "Der Name steht fest.", "placeholders", "de"),
                (access, "\n1. \n2. \n", "placeholders", "de"),
                (access, access.lstrip("\n"), "begin with '\\n'", "de"),
                ("Preferences…", "Einstellungen", "ellipsis", "de"),
                ("Cancel", "Abbrechen ", "blanks", "de"),
                ("&Name:", "Name:", "accelerators", "de"),
                ("&Name:", "&Na&me:", "accelerators", "de"),
                ("&Name:", "Name &:", "no letter", "de"),
                ("&Name:", "&名前:", "(&X)", "ja"),
                ("context menu;template;copy;move;hide;icon;", "Kontextmenü", "list", "de")):
            with self.subTest(translation=translation):
                path = self.rewrite(text, lambda message, new=translation:
                                    setattr(message, "translations", [new]), language)
                self.assertIn(fault, self.faults(path))
                shutil.copy(ROOT / "resources" / "translations" / path.name, path)

    def test_plural_forms_have_one_translation_each_with_the_number(self):
        for translations, fault in ((["%n Objekt"], "not translated"),
                                    (["%n Objekt", ""], "not translated"),
                                    (["%n Objekt", "Objekte"], "placeholders")):
            with self.subTest(translations):
                path = self.rewrite("%n item", lambda message, new=translations:
                                    setattr(message, "translations", new))
                self.assertIn(fault, self.faults(path))

    def test_two_controls_of_a_page_with_one_accelerator(self):
        path = self.rewrite("&Remove", lambda message:
                            setattr(message, "translations", ["Lösc&hen"]))
        self.assertIn("'h' more than once: ['&Add…', '&Remove']", self.faults(path))

    def test_an_uncertain_a_missing_and_an_unknown_text(self):
        path = self.rewrite("Cancel", lambda message: message.flags.add("fuzzy"))
        self.assertIn("fuzzy", self.faults(path))
        self.texts.add("Brand new")
        self.assertIn("no translation, run scripts/update-translations: 'Brand new'",
                      self.faults(path))
        self.texts.remove("Cancel")
        self.assertIn("no such text", self.faults(path))

    def test_a_file_that_is_none(self):
        path = self.folder / "de.po"
        path.write_text(path.read_text() + "\nmsgid \"open\n")
        self.assertIn("de.po", self.faults(path))

    def test_texts_that_were_not_collected(self):
        template = self.folder / "tavrin.pot"
        po_file.write(template, [message for message in po_file.read(template)
                                 if message.text != "Quit Tavrin"])
        checked = subprocess.run([SCRIPT, self.folder], stdout=subprocess.PIPE, check=False)
        self.assertEqual(checked.returncode, 1)
        self.assertIn("not as in the sources, run scripts/update-translations: 'Quit Tavrin'",
                      checked.stdout.decode())


if __name__ == "__main__":
    unittest.main()
