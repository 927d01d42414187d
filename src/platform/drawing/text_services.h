#pragma once

#include "platform/drawing/device_context.h"
#include "platform/drawing/text_host.h"

#include <memory>
#include <string_view>

/// Laying out text: line breaking, bidirectional order, combining marks, and other fonts for what a
/// font lacks. The services hold one text and draw or measure it in the format that their host
/// gives.
namespace generalutilities {

class TextServices {
  public:
    virtual ~TextServices() = default;

    /// With TXTBIT_CHARFORMATCHANGE: the host's character format is to be fetched again.
    virtual void OnTxPropertyBitsChange(std::uint32_t mask, std::uint32_t bits) = 0;
    /// Lines end at CR, LF, CR LF, U+2028 and U+2029. An unpaired surrogate is U+FFFD.
    virtual void TxSetText(std::u16string_view text) = 0;
    /// Draws the text from the upper edge of `bounds`, wrapped to its width, in the colour of the
    /// format. Nothing outside `bounds` and nothing but the letters changes.
    virtual void TxDraw(DeviceContext& context, const tagRECT& bounds) = 0;
    /// The width of the widest line and the height of all lines when the text is wrapped to
    /// `width`, in device units, rounded up. Without a context as for an image.
    virtual SIZE TxGetNaturalSize(DeviceContext* context, std::int32_t width) = 0;
};

/// Services for this host, which must outlive them; null where the libraries that they stand on are
/// missing.
std::unique_ptr<TextServices> CreateTextServices(ITextHost& host);

}  // namespace generalutilities
