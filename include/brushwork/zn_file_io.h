// znFileIO: the base of classes that read and write one family of files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "brushwork/export.h"
#include "brushwork/filename.h"
#include "brushwork/i_string.h"
#include "brushwork/image_file_info.h"
#include "brushwork/reference_count.h"

namespace brushwork {

// Counted: hold it by a Ref. It has no state but its lists, which are filled at construction, so
// any thread may use it.
//
// The virtual operations stand in the order that derived classes and hosts rely on. What a class
// doesn't do it answers as said here.
class BRUSHWORK_API znFileIO : public zn::ReferenceCount {
  public:
    znFileIO();

  protected:
    ~znFileIO() override;  // 1

  public:
    [[nodiscard]] virtual bool canRead() = 0;                                    // 2
    [[nodiscard]] virtual bool canWrite() = 0;                                   // 3
    [[nodiscard]] virtual bool acceptsFile(const znOS::Filename& filename) = 0;  // 4
    // What can be told of the file without its pixels. Here: 100 x 100, one image, true.
    [[nodiscard]] virtual bool readHeader(const ImageDescriptor& descriptor,
                                          ImageFileInfo& info);                        // 5
    [[nodiscard]] virtual bool readMetadata(ImageDescriptor& descriptor) = 0;          // 6
    [[nodiscard]] virtual bool writeMetadata(ImageDescriptor& descriptor) = 0;         // 7
    [[nodiscard]] virtual bool hasSettings();                                          // 8: false
    [[nodiscard]] virtual std::int32_t layerCount(const ImageDescriptor& descriptor);  // 9: 0
    [[nodiscard]] virtual znString::IString layerName(const ImageDescriptor& descriptor,
                                                      std::int32_t index);  // 10: empty
    [[nodiscard]] virtual bool loadLayer(ImageDescriptor& descriptor,
                                         std::int32_t index);  // 11: false

    // Filters in the form of a file dialog: description, bar, patterns, bar. Extensions begin with
    // their dot. An index without an entry answers an empty text.
    [[nodiscard]] std::size_t readFilterCount() const { return readFilters_.size(); }
    [[nodiscard]] znString::IString readFilter(std::size_t index) const;
    [[nodiscard]] std::size_t readExtensionCount() const { return readExtensions_.size(); }
    [[nodiscard]] znString::IString readExtension(std::size_t index) const;

  protected:
    using Texts = std::vector<znString::IString>;

    Texts readFilters_;
    Texts writeFilters_;
    Texts readExtensions_;
    Texts writeExtensions_;
    Texts mimeTypes_;  // for derived classes
};

}  // namespace brushwork
