#pragma once

#include <cstdint>
#include <vector>

#include "kel/scene/frame_buffer.h"
#include "kel/scene/objects.h"

namespace kel {

// A part of an image that a module has loaded into its texture, in the image's pixels, rows from the bottom.
struct UploadedPart {
    ObjectId image = noObject;
    FrameArea area;
    int places = 0;  // units of containers on which it has been found
};

// What has changed since the picture was drawn last.
class SceneChanges {
public:
    // Something that shows anywhere: a camera, a container, what texture lies where.
    void AddEverything() {
        m_isEverything = true;
        ++m_drawings;
    }
    // A picture that no drawing is seen in or through: it shows anywhere, and the drawings are as they were.
    void AddPicture() { m_isEverything = true; }
    void AddUpload(const UploadedPart& part) {
        m_uploads.push_back(part);
        ++m_drawings;
    }
    // Modules ask for something else of OpenGL.
    void AddCalls() { ++m_drawings; }
    // Where uploads are seen, in the window's pixels.
    void AddArea(const FrameArea& area);

    [[nodiscard]] bool IsEverything() const { return m_isEverything; }
    // In the order in which they came; not yet led to where they are seen.
    [[nodiscard]] std::vector<UploadedPart>& Uploads() { return m_uploads; }
    [[nodiscard]] const FrameArea& Area() const { return m_area; }
    // Another number whenever drawings may be seen otherwise; never forgotten.
    [[nodiscard]] std::uint64_t Drawings() const { return m_drawings; }

    void ForgetUploads() { m_uploads.clear(); }
    void ForgetArea() { m_area = {}; }
    void Forget() {
        m_isEverything = false;
        ForgetUploads();
        ForgetArea();
    }

private:
    bool m_isEverything = true;  // there is no picture yet
    std::vector<UploadedPart> m_uploads;
    FrameArea m_area;
    std::uint64_t m_drawings = 0;
};

// Both together; an area without width is nothing.
[[nodiscard]] FrameArea Union(const FrameArea& one, const FrameArea& other);

// Where a part of the image that the active texture unit shows is seen on a container, with a margin for what is taken
// from between the pixels. OpenGL's matrices are those with which the container is drawn. Empty: nowhere. False: that
// cannot be told.
[[nodiscard]] bool FindSeenArea(const ImageObject& image, const UploadedPart& part, const Placement& placement,
                                FrameArea window, FrameArea& seen);

}  // namespace kel
