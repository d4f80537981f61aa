#include "norvik/RecordingLibrary.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "base/Text.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/ReadRecording.h"

namespace quillon {

namespace {

constexpr TypeName kAllTypes{u"Supported Files", u"Поддерживаемые файлы"};

/// Of a recording in thousands of files only the last ones are told: what is added to it is added there.
constexpr std::size_t kMostOtherFiles = 16;

/// Each file once, as it was opened last.
std::vector<OtherFile> LastOf(const std::vector<OtherFile>& opened) {
    std::vector<OtherFile> files;
    for (auto file = opened.rbegin(); file != opened.rend() && files.size() < kMostOtherFiles; ++file) {
        const auto same = [&](const OtherFile& other) { return other.path == file->path; };
        if (std::none_of(files.begin(), files.end(), same)) files.push_back(*file);
    }
    return files;
}

class FileRecording final : public Recording {
  public:
    FileRecording(std::u16string fileName, std::vector<OtherFile> others, RecordingContent content, Language language)
        : m_fileName(std::move(fileName)),
          m_others(std::move(others)),
          m_content(std::move(content)),
          m_language(language) {}

    [[nodiscard]] std::u16string FileName() const override { return m_fileName; }
    [[nodiscard]] std::vector<OtherFile> OtherFiles() const override { return m_others; }
    [[nodiscard]] std::u16string FormatName() const override { return m_content.format; }
    [[nodiscard]] std::u16string FileInfo() const override { return m_content.info.In(m_language); }
    [[nodiscard]] std::int16_t BlockCount() const override {
        return static_cast<std::int16_t>(m_content.blocks.size());
    }
    [[nodiscard]] std::shared_ptr<RecordingBlock> GetBlock(std::int16_t number) override {
        if (number < 1 || number > BlockCount()) throw std::out_of_range("a block outside the recording");
        return m_content.blocks[static_cast<std::size_t>(number) - 1];
    }
    bool ReadMore(std::int16_t block, std::int32_t nearSample) override {
        return m_content.readMore && m_content.readMore(m_content, block, nearSample);
    }
    [[nodiscard]] double ReadShare() const override { return m_content.share; }
    [[nodiscard]] std::int32_t Version() const override { return m_content.version; }

  private:
    std::u16string m_fileName;
    std::vector<OtherFile> m_others;
    RecordingContent m_content;
    Language m_language;
};

class FileLibrary final : public RecordingLibrary {
  public:
    explicit FileLibrary(Language language) : m_language(language) {}

    bool OpenRecording(const std::u16string& fileName, std::shared_ptr<Recording>& recording) override {
        recording.reset();
        try {
            Bilingual reason;
            const std::shared_ptr<ByteSource> source = OpenFileSource(fileName, reason);
            m_lastError = reason.In(m_language);
            if (!source) return false;
            source->SetErrorLanguage(m_language);
            const auto opened = std::make_shared<std::vector<OtherFile>>();
            RecordingContent content = ReadRecording({source, fileName, FilesBeside(fileName, m_language, opened)});
            recording = std::make_shared<FileRecording>(fileName, LastOf(*opened), std::move(content), m_language);
            return true;
        } catch (const FormatError& error) {
            m_lastError = error.Reason().In(m_language);
        } catch (const std::bad_alloc&) {
            m_lastError =
                Say(u"not enough memory to open the file", u"не хватает памяти, чтобы открыть файл").In(m_language);
        } catch (const std::exception& error) {
            m_lastError = Utf16(error.what());
        }
        return false;
    }

    void CloseRecording(std::shared_ptr<Recording>& recording) override { recording.reset(); }
    [[nodiscard]] std::u16string LastErrorText() const override { return m_lastError; }
    [[nodiscard]] std::int32_t FileTypeCount() const override { return static_cast<std::int32_t>(FileTypes().size()); }

    [[nodiscard]] std::u16string FileTypeName(std::int32_t index) const override {
        const TypeName& name = index == 0 ? kAllTypes : Type(index).name;
        return std::u16string(m_language == Language::Russian ? name.russian : name.english);
    }

    [[nodiscard]] std::u16string FileTypeMask(std::int32_t index) const override {
        if (index != 0) return std::u16string(Type(index).masks);
        std::u16string all;
        for (const FileType& type : FileTypes()) {
            if (!all.empty()) all += u';';
            all += type.masks;
        }
        return all;
    }

  private:
    static const FileType& Type(std::int32_t index) {
        if (index < 1 || static_cast<std::size_t>(index) > FileTypes().size()) {
            throw std::out_of_range("a file type that there is not");
        }
        return FileTypes()[static_cast<std::size_t>(index) - 1];
    }

    Language m_language;
    std::u16string m_lastError;
};

}  // namespace

std::shared_ptr<RecordingLibrary> MakeRecordingLibrary(Language language) {
    return std::make_shared<FileLibrary>(language);
}

}  // namespace quillon
