// Lines of a file: this library and the C library.

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "Duty.h"
#include "Floor.h"
#include "TqFile.h"

namespace {

class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& text) {
        std::FILE* stream = fdopen(mkstemp(&name[0]), "w");
        std::fwrite(text.data(), 1, text.size(), stream);
        std::fclose(stream);
    }
    ~TemporaryFile() { std::remove(name.c_str()); }

    std::string name = "/tmp/tqcommon_bench_XXXXXX";
};

const RegisterDuty linesOwn("lines", ownName, [](unsigned int size) -> Work {
    const TemporaryFile text(Lines(size));
    const std::shared_ptr<TqFile> file(new TqFile, [](TqFile* opened) {
        opened->Close();
        delete opened;
    });
    file->Open(text.name.c_str(), TqFile::read);
    return [file](unsigned int times) {
        for (; times > 0; --times) {
            std::rewind(file->stream);
            while (const char* line = file->NextLine()) Keep(line);
        }
    };
});

const RegisterDuty linesStated("lines", floorName, [](unsigned int size) -> Work {
    const TemporaryFile text(Lines(size));
    const auto file = std::make_shared<StatedFile>(std::fopen(text.name.c_str(), "r"));
    return [file](unsigned int times) {
        for (; times > 0; --times) {
            std::rewind(file->stream);
            while (const char* line = Opaque(file.get())->Next()) Keep(line);
        }
    };
});

const RegisterDuty linesStd("lines", "fgets", [](unsigned int size) -> Work {
    const TemporaryFile text(Lines(size));
    const std::shared_ptr<std::FILE> file(std::fopen(text.name.c_str(), "r"), std::fclose);
    return [file](unsigned int times) {
        static char buffer[1024];
        for (; times > 0; --times) {
            std::rewind(file.get());
            while (const char* line = std::fgets(buffer, sizeof buffer, file.get())) Keep(line);
        }
    };
});

}  // namespace
