#include "backend/protocol/LossPointDecoder.h"

#include "backend/protocol/JsonDocument.h"

namespace zorel::backend::protocol {

class LossPointDecoder::Implementation
{
public:
    std::optional<LossPoint> decode(std::string_view line, std::size_t readable)
    {
        std::int64_t step = 0;
        double loss = 0;
        const bool isPoint = read(line, readable, step, loss);
        m_document.close();
        return isPoint ? std::optional<LossPoint>(std::in_place, step, loss) : std::nullopt;
    }

private:
    bool read(std::string_view line, std::size_t readable, std::int64_t &step, double &loss)
    {
        ondemand::object object;
        if (!m_document.open(line, readable, object))
            return false;
        FieldsRead fields;
        const bool wellFormed = readObject(
            object, fields, field<"step">([&](ondemand::value &value) { return readInteger(value, step); }),
            field<"loss">([&](ondemand::value &value) { return readNumber(value, loss); }));
        return wellFormed && fields.hasAll(0, 2) && m_document.isAtEnd();
    }

    JsonDocument m_document;
};

LossPointDecoder::LossPointDecoder()
    : m_implementation(std::make_unique<Implementation>())
{}
LossPointDecoder::~LossPointDecoder() = default;
LossPointDecoder::LossPointDecoder(LossPointDecoder &&) noexcept = default;
LossPointDecoder &LossPointDecoder::operator=(LossPointDecoder &&) noexcept = default;

std::optional<LossPoint> LossPointDecoder::decode(std::string_view line, std::size_t readable)
{
    return m_implementation->decode(line, readable);
}

} // namespace zorel::backend::protocol
