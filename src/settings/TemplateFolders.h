#pragma once

#include "foundation/PropertyList.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"

namespace tavrin {

/// The folders of templates and menu images that the program keeps for its group. Nothing here
/// fails: what cannot be made is left out. Used on the main thread.
class TemplateFolders {
 public:
  /// All outlive this object.
  TemplateFolders(const Bundle& bundle, FileManager& fileManager, Log& log);

  /// Fills in the folder of templates and builds the two image folders anew. For each record of
  /// `createNewFileRecords` the image of its extension and its template come from the resources;
  /// files that are there already stay, so the user's own are never replaced. A resource that the
  /// program does not have is left out silently; the first other cause reaches the log, in one
  /// line.
  void prepare(const PropertyList::Array& createNewFileRecords);

 private:
  class Preparation;

  const Bundle& bundle_;
  FileManager& fileManager_;
  Log& log_;
};

}  // namespace tavrin
