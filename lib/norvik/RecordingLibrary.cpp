#include "norvik/RecordingLibrary.h"

#include <array>
#include <new>
#include <stdexcept>

#include "base/Text.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/ReadRecording.h"

namespace quillon {

namespace {

struct FileType {
    std::u16string_view english;
    std::u16string_view russian;
    std::u16string_view mask;
};

/// The first entry stands for all of them; its mask is put together from the others.
constexpr std::array<FileType, 5> kFileTypes{{
    {u"Supported Files", u"Поддерживаемые файлы", u""},
    {u"Binary Files", u"Двоичные файлы", u"*.bin"},
    {u"Waveform Audio", u"Звуковые файлы", u"*.wav;*.rf64"},
    {u"European Data Format", u"Европейский формат данных", u"*.edf"},
    {u"BDF 24-bit", u"BDF, 24 бита", u"*.bdf"},
}};

class FileRecording final : public Recording {
  public:
    FileRecording(std::u16string fileName, RecordingContent content, Language language)
        : m_fileName(std::move(fileName)), m_content(std::move(content)), m_language(language) {}

    [[nodiscard]] std::u16string FileName() const override { return m_fileName; }
    [[nodiscard]] std::u16string FileInfo() const override { return m_content.info.In(m_language); }
    [[nodiscard]] std::int16_t BlockCount() const override {
        return static_cast<std::int16_t>(m_content.blocks.size());
    }
    [[nodiscard]] std::shared_ptr<RecordingBlock> GetBlock(std::int16_t number) override {
        if (number < 1 || number > BlockCount()) throw std::out_of_range("a block outside the recording");
        return m_content.blocks[static_cast<std::size_t>(number) - 1];
    }

  private:
    std::u16string m_fileName;
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
            source->TellIn(m_language);
            RecordingContent content = ReadRecording(source, fileName);
            recording = std::make_shared<FileRecording>(fileName, std::move(content), m_language);
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
    [[nodiscard]] std::int32_t FileTypeCount() const override {
        return static_cast<std::int32_t>(kFileTypes.size()) - 1;
    }

    [[nodiscard]] std::u16string FileTypeName(std::int32_t index) const override {
        const FileType& type = Type(index);
        return std::u16string(m_language == Language::Russian ? type.russian : type.english);
    }

    [[nodiscard]] std::u16string FileTypeMask(std::int32_t index) const override {
        if (index != 0) return std::u16string(Type(index).mask);
        std::u16string all;
        for (const FileType& type : kFileTypes) {
            if (!all.empty()) all += u';';
            all += type.mask;
        }
        return all;
    }

  private:
    static const FileType& Type(std::int32_t index) {
        if (index < 0 || static_cast<std::size_t>(index) >= kFileTypes.size()) {
            throw std::out_of_range("a file type that there is not");
        }
        return kFileTypes[static_cast<std::size_t>(index)];
    }

    Language m_language;
    std::u16string m_lastError;
};

}  // namespace

std::shared_ptr<RecordingLibrary> MakeRecordingLibrary(Language language) {
    return std::make_shared<FileLibrary>(language);
}

}  // namespace quillon
