"""What the user reads and gets is in the language of the session."""

from session import BUILD_DIR, HostTest, main, wait_until

LOCALES = BUILD_DIR / "tests" / "locales"


class German(HostTest):
    def setUp(self):
        super().setUp()
        self.session.environment |= {"LANG": "de_DE.UTF-8", "LOCPATH": str(LOCALES)}

    def test_panels_and_names_of_new_files(self):
        host = self.session.start_waiting_host()
        folder = self.make_folder("hier")
        self.session.send("createNewFile", Path=str(folder), Tag=0)
        self.session.authorize("^Zugriff erlauben$")
        wait_until((folder / "Unbenannt.txt").exists, "the new file")
        self.assertEqual(self.names_in(folder), ["Unbenannt.txt"])
        self.assert_alive(host)

    def test_a_language_before_the_one_of_the_locale(self):
        self.session.environment["LANGUAGE"] = "fr:de"
        self.session.start_waiting_host()
        folder = self.make_folder("ici")
        self.session.send("createNewFile", Path=str(folder), Tag=0)
        self.session.authorize("^Autoriser l’accès$")
        wait_until((folder / "sans titre.txt").exists, "the new file")

    def test_a_locale_that_the_system_does_not_have_leaves_english(self):
        self.session.environment["LANG"] = "xx_XX.UTF-8"
        self.session.start_waiting_host()
        folder = self.make_folder("here")
        self.session.send("createNewFile", Path=str(folder), Tag=0)
        self.session.authorize()
        wait_until((folder / "untitled.txt").exists, "the new file")


if __name__ == "__main__":
    main()
