"""What the user sees: pictures of the menus, light and dark, and the emblem of what is cut."""

import subprocess

from menu_test_case import COMMANDS, MenuTest, main
from session import PATIENCE, end_program, file_url, wait_until

# Of an emblem, in pixels, at the smallest size that it is shown in.
A_FEW = 4


class Looks(MenuTest):
    def configure(self):
        """The host gives both stores their defaults."""

    def test_menus_are_light_or_dark_as_the_desktop_is(self):
        self.start_host()
        self.session.start_program(["xcompmgr"])
        for is_dark, look in ((False, "light"), (True, "dark")):
            self.start_manager(is_dark=is_dark)
            self.picture_submenu(f"{look}-file", COMMANDS, "alpha.txt")
            self.picture_submenu(f"{look}-files", "Copy to Folder", "alpha.txt", "notes.txt")
            self.picture_submenu(f"{look}-icon", "Set Icon", "project")
            self.picture_submenu(f"{look}-folder", "New File")
            self.assertEqual(self.brightness() < 0.5, is_dark)
            if not is_dark:
                end_program(self.manager.program)

    def picture_submenu(self, name, title, *names):
        """Keeps a picture of an open submenu, in which the last item is still to be reached."""
        entries = self.manager.open_menu(*names)
        inner = self.manager.submenu(self.manager.entry(title, entries))[-1].title
        shown = self.manager.open_submenu(self.manager.entry(title, entries, holding=inner))
        self.manager.move_to((1270, 890))
        picture = self.session.screenshot(f"menu-{self.manager.name}-{name}")
        self.menu_picture = picture, self.manager.middle(shown[0])
        self.manager.close_menu()

    def brightness(self):
        """How light the menu of the last picture is around its first item, from 0 to 1."""
        picture, (x, y) = self.menu_picture
        told = subprocess.run(
            ["convert", picture, "-crop", f"60x16+{x - 30}+{y - 8}", "-colorspace", "gray",
             "-format", "%[fx:mean]", "info:"], stdout=subprocess.PIPE, check=True,
            timeout=PATIENCE).stdout
        return float(told)

    def test_what_is_cut_has_an_emblem_until_something_else_is(self):
        if not self.manager.has_emblems:
            self.skipTest(f"{self.manager.name} has no emblems of extensions")
        self.start_host()
        self.start_manager()
        self.assertEqual(self.red_pixels(), 0)
        self.cut("alpha.txt")
        one = self.wait_for_emblems(A_FEW)
        self.cut("alpha.txt", "notes.txt")
        self.wait_for_emblems(one * 2)
        self.cut("notes.txt")
        self.wait_for_emblems(one, below=one * 2)

    def cut(self, *names):
        self.choose(names, COMMANDS, "Cut")
        uris = [file_url(self.here / name) for name in names]
        wait_until(lambda: self.session.export_domain("group").get("filesUrlOfCutting", "")
                   == "|".join(uris), "the cut")
        self.manager.click(self.manager.empty_point)

    def wait_for_emblems(self, least, below=None):
        """Waits until the view has emblems on so many pixels; returns how many."""
        if self.manager.key_of_icons:
            self.manager.key(self.manager.key_of_icons)
        wait_until(lambda: least <= self.red_pixels() < (below or least * 100),
                   f"emblems of {least} pixels")
        found = self.red_pixels()
        self.session.screenshot(f"emblem-{self.manager.name}")
        if self.manager.key_of_list:
            self.manager.key(self.manager.key_of_list)
            self.manager.prepare_view()
        return found

    def red_pixels(self):
        """How many pixels of the view are red, as only emblems are."""
        pixels = subprocess.run(
            ["import", "-window", "root", "-crop", "1000x720+270+100", "-depth", "8", "rgb:-"],
            env=self.session.environment, stdout=subprocess.PIPE, check=True,
            timeout=PATIENCE).stdout
        return sum(red > 150 and green < 100 and blue < 100
                   for red, green, blue in zip(pixels[::3], pixels[1::3], pixels[2::3]))


main()
