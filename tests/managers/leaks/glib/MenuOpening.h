#pragma once

#include <dlfcn.h>
#include <gio/gio.h>

#include <cstdio>
#include <cstdlib>
#include <string>

/// Loads the module of a file manager with its own library, opens its menus and lets go of all that
/// it was given, as the file manager does. `Manager` says by which types and functions.
namespace tavrin::test {

[[noreturn]] inline void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

/// Files of a file manager.
template <typename Manager>
class TestFiles {
 public:
  TestFiles()
      : type_(g_type_register_static_simple(G_TYPE_OBJECT, "TavrinTestFile", sizeof(GObjectClass),
                                            nullptr, sizeof(File), nullptr, GTypeFlags{})) {
    GInterfaceInfo info{};
    info.interface_init = [](gpointer interface, gpointer) {
      auto* file = static_cast<typename Manager::FileInterface*>(interface);
      file->get_uri = uri;
      file->get_activation_uri = [](FileInfo* link) {
        return g_strdup(reinterpret_cast<File*>(link)->target);
      };
      file->get_mime_type = [](FileInfo*) { return g_strdup("inode/directory"); };
      file->is_directory = [](FileInfo*) -> gboolean { return TRUE; };
      file->add_emblem = [](FileInfo* marked, const char*) {
        reinterpret_cast<File*>(marked)->hasEmblem = true;
      };
    };
    g_type_add_interface_static(type_, Manager::fileInfoType(), &info);
  }

  /// A folder, so that it can be selected and in view. `address` is its URI, `target` that of what
  /// is opened in its place.
  GObject* create(const char* address, const char* target) const {
    auto* file = static_cast<File*>(g_object_new(type_, nullptr));
    file->address = address;
    file->target = target;
    return &file->parent;
  }

  static bool hasEmblem(GObject* file) { return reinterpret_cast<File*>(file)->hasEmblem; }

 private:
  using FileInfo = typename Manager::FileInfo;

  struct File {
    GObject parent;
    const char* address;
    const char* target;
    bool hasEmblem;
  };

  static char* uri(FileInfo* file) { return g_strdup(reinterpret_cast<File*>(file)->address); }

  GType type_;
};

/// A module as file managers load it.
class TestModule {
 public:
  /// The type that the module at `path` makes menus by; `prefix` begins the names of its functions.
  static GType menuType(const char* path, const std::string& prefix) {
    library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    require(library != nullptr, "the module cannot be loaded");
    initialize = function<void(GTypeModule*)>(prefix + "_module_initialize");
    GTypeInfo info{};
    info.class_size = sizeof(GTypeModuleClass);
    info.instance_size = sizeof(GTypeModule);
    info.class_init = [](gpointer moduleClass, gpointer) {
      auto* functions = static_cast<GTypeModuleClass*>(moduleClass);
      functions->load = [](GTypeModule* module) -> gboolean {
        initialize(module);
        return TRUE;
      };
      functions->unload = [](GTypeModule*) { fail("the module does not stay loaded"); };
    };
    const GType type =
        g_type_register_static(G_TYPE_TYPE_MODULE, "TavrinTestModule", &info, GTypeFlags{});
    auto* module = static_cast<GTypeModule*>(g_object_new(type, nullptr));
    g_type_module_use(module);
    g_type_module_unuse(module);
    const GType* types = nullptr;
    int count = 0;
    function<void(const GType**, int*)>(prefix + "_module_list_types")(&types, &count);
    require(count == 1, "the module has another number of types");
    return *types;
  }

 private:
  template <typename Function>
  static Function* function(const std::string& name) {
    auto* found = reinterpret_cast<Function*>(dlsym(library, name.c_str()));
    require(found != nullptr, name.c_str());
    return found;
  }

  static inline void* library = nullptr;
  static inline void (*initialize)(GTypeModule*) = nullptr;
};

/// Opens the menus of a module.
template <typename Manager>
class MenuOpening {
 public:
  MenuOpening(const char* module, const char* prefix)
      : provider_(g_object_new(TestModule::menuType(module, prefix), nullptr)) {}

  void run(long openings) {
    for (long opening = 0; opening < openings; ++opening) {
      // The file managers forget a reference of each submenu.
      const auto submenus = opening % 2 == 0 ? Submenus::Free : Submenus::Forget;
      open(submenus);
      require(file_->ref_count <= 1 + keptMenus, "a file is held by more menus than are kept");
    }
  }

 private:
  enum class Submenus { Free, Forget };

  /// For submenus that are still shown when their menu has gone.
  static constexpr unsigned keptMenus = 16;

  void open(Submenus submenus) {
    GList* selection = g_list_append(nullptr, file_);
    GList* ofFile = Manager::itemsOfFiles(provider_, selection);
    g_list_free(selection);
    require(readAndFree(ofFile, submenus) >= 10, "rows are missing in the menu of a file");
    auto* folder = reinterpret_cast<typename Manager::FileInfo*>(file_);
    GList* ofFolder = Manager::itemsOfFolder(provider_, folder);
    require(readAndFree(ofFolder, submenus) >= 10, "rows are missing in the menu of a folder");
    require(!getsEmblem(file_), "a file has an emblem that is not cut");
    require(getsEmblem(cutFile_), "a file is cut and has no emblem");
    require(getsEmblem(recentFile_), "a recent file is not taken for the file that it is");
    require(!getsEmblem(link_), "a link is taken for what it leads to");
  }

  bool getsEmblem(GObject* file) {
    Manager::updateInfo(provider_, reinterpret_cast<typename Manager::FileInfo*>(file), updated_);
    return TestFiles<Manager>::hasEmblem(file);
  }

  /// Returns how many items there were, those of submenus among them.
  static int readAndFree(GList* items, Submenus submenus) {
    int count = 0;
    for (GList* each = items; each != nullptr; each = each->next) {
      g_autofree char* name = nullptr;
      g_autofree char* label = nullptr;
      typename Manager::Submenu* submenu = nullptr;
      g_object_get(each->data, "name", &name, "label", &label, "menu", &submenu, nullptr);
      require(name != nullptr && *name != '\0', "an item without a name");
      require(label != nullptr && *label != '\0', "an item without a label");
      ++count;
      if (submenu == nullptr) continue;
      count += readAndFree(Manager::itemsOfSubmenu(submenu), submenus);
      if (submenus == Submenus::Free) g_object_unref(submenu);
    }
    g_list_free_full(items, g_object_unref);
    return count;
  }

  gpointer provider_;
  TestFiles<Manager> files_;
  GObject* file_ = files_.create("file:///usr/share", "file:///usr/share");
  // The settings say that /usr/lib is cut.
  GObject* cutFile_ = files_.create("file:///usr/lib", "file:///usr/lib");
  GObject* recentFile_ = files_.create("recent:///1", "file:///usr/lib");
  GObject* link_ = files_.create("computer:///root.link", "file:///usr/lib");
  GClosure* updated_ = g_cclosure_new([] { fail("an emblem comes late"); }, nullptr, nullptr);
};

/// The program: MODULE is the path of the module, OPENINGS how often its menus are opened. Fails
/// where a menu is not as it should be.
template <typename Manager>
int runMenuOpening(int argumentCount, char** arguments, const char* prefix) {
  require(argumentCount == 3, "usage: MODULE OPENINGS");
  // As in a file manager, the module is there to the end.
  static MenuOpening<Manager> opening(arguments[1], prefix);
  opening.run(std::strtol(arguments[2], nullptr, 10));
  return EXIT_SUCCESS;
}

}  // namespace tavrin::test
