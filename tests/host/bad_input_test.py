"""Requests that no menu writes: the host lives, says why in one line, and serves the next one."""

from session import HostTest, main

LONG = "x" * 100_000
FILES = "SelectedFilesUrl"
# The commands that ask the user for a folder are tried with their panels elsewhere.
KEYS = {
    "createNewFile": ["Path", "Tag"], "copyFilesTo": [FILES, "ToPath"],
    "moveFilesTo": [FILES, "ToPath"], "customIcon": ["SelectedFile", "Tag"],
    "openCommonPath": ["Path"], "cutSelectedFiles": [FILES],
    "pasteSelectedFiles": ["CuttingFilesURL", "PasteInPath"], "hiddenSelectedFiles": [FILES],
    "unHiddenSelectedFiles": [FILES], "deleteDirectlySelectedFiles": [FILES],
    "hiddenAllFilesInPath": ["Path"], "unhiddenAllFilesInPath": ["Path"],
    "openInVSCode": ["Path"], "openInIDEA": ["Path"], "openInSublimeText": ["Path"],
    "openInEmacs": ["Path"], "openFileInVSCode": ["File", "Path"],
    "openFileInIDEA": ["File", "Path"], "openFileInSublimeText": ["File", "Path"],
    "openFileInEmacs": ["File", "Path"], "pinbySnapvane": [FILES],
    "imageToIconSetForMac": ["File"], "imageToIconSetForiOS": ["File"],
}
WRONG_TYPES = [7, True, 2.5, b"data", ["file:///x"], {"key": "value"}]
ODD_TAGS = [-1, -2**63, 2**63 - 1, "", "text", "99999999999999999999", 1.5e300, LONG]


class BadInput(HostTest):
    def setUp(self):
        super().setUp()
        self.host = self.session.start_waiting_host()
        self.session.wait_for_settings()
        self.switch("enableDirectDeleteFiles", True)
        self.session.grant("/")
        self.item = self.make_file("here/a.txt")
        self.folder = self.item.parent
        self.good = {"Path": str(self.folder), "ToPath": str(self.folder / "gone"),
                     "PasteInPath": str(self.folder / "gone"), "Tag": 1,
                     "SelectedFile": str(self.item), "File": str(self.item)}

    def serve(self, requests):
        """Hands over raw requests and waits for their end; returns what the log says of them."""
        before = len(self.session.log_lines())
        paths = [self.session.write_request(request) for request in requests]
        for start in range(0, len(paths), 100):
            self.session.open_with_host(*paths[start:start + 100])
        self.serves_a_request()
        self.assert_alive(self.host)
        return self.session.log_lines()[before:]

    def test_values_of_wrong_types_do_nothing(self):
        requests = [{**self.good, "Action": action, key: value}
                    for action, keys in KEYS.items() for key in keys if key != "Tag"
                    for value in WRONG_TYPES]
        lines = self.serve(requests)
        self.assertEqual(len(lines), len(requests), lines[:5])
        self.assertTrue(all("ignored" in line for line in lines))
        self.assertEqual(self.names_in(self.folder), ["a.txt"])

    def test_missing_empty_and_endless_values_end_in_a_line(self):
        for name, value in (("missing", None), ("empty", ""), ("endless", "/" + LONG),
                            ("endless name", "file:///" + LONG), ("no path", "a b|\n%")):
            for action, keys in KEYS.items():
                for key in keys:
                    if key == "Tag" or (key == "Path" and len(keys) == 2):
                        continue
                    with self.subTest(action=action, key=key, value=name):
                        request = {**self.good, "Action": action, key: value}
                        if value is None:
                            del request[key]
                        lines = self.serve([request])
                        self.assertLessEqual(len(lines), 2, lines)
        self.assertEqual(self.names_in(self.folder), ["a.txt"])

    def test_tags_may_be_anything(self):
        lines = self.serve([{**self.good, "Action": action, "Tag": tag}
                            for action in ("createNewFile", "customIcon") for tag in ODD_TAGS])
        # Only what is beyond the list has no icon; the rest asks for none, as text does.
        self.assertEqual(len([line for line in lines if "there is no icon" in line]), 3, lines)
        made = {name for name in self.names_in(self.folder) if name != "a.txt"}
        self.assertEqual(len(made), len(ODD_TAGS))
        for name in made:
            self.assertRegex(name, r"^untitled( \d+)?\.(\(null\)|\w+)$")


main()
