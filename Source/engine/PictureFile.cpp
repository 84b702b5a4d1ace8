#include "engine/PictureFile.h"

#include <OgreArchiveManager.h>
#include <OgreImage.h>
#include <OgreResourceGroupManager.h>

#include "platform/FileName.h"

namespace keladjust {

namespace {

/// The folder of a picture, known to the engine while this object lives: the engine opens files
/// only in folders that it knows. A group of its own keeps a file of the same name in another
/// folder from being taken instead.
class PictureFolder {
public:
    static const std::string& group() {
        static const std::string name = "KelPictureFolder";
        return name;
    }

    explicit PictureFolder(const std::string& folder) : folder_(folder) {
        auto& resources = Ogre::ResourceGroupManager::getSingleton();
        // Left behind by one that could not leave.
        if (resources.resourceGroupExists(group())) resources.destroyResourceGroup(group());
        resources.createResourceGroup(group(), false);
        try {
            resources.addResourceLocation(folder_, "FileSystem", group());
        } catch (...) {
            leave();
            throw;
        }
    }
    ~PictureFolder() { leave(); }
    PictureFolder(const PictureFolder&) = delete;
    PictureFolder& operator=(const PictureFolder&) = delete;

private:
    void leave() noexcept {
        try {
            Ogre::ResourceGroupManager::getSingleton().destroyResourceGroup(group());
            Ogre::ArchiveManager::getSingleton().unload(folder_);
        } catch (...) {
            // The engine keeps an entry that nobody uses.
        }
    }

    std::string folder_;
};

}  // namespace

void loadPictureFile(const std::string& path, Ogre::Image& image) {
    image.freeMemory();
    const std::string& defaultGroup = Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME;
    const std::size_t nameBegin = platform::fileNameBegin(path);
    const std::string name = path.substr(nameBegin);
    if (name.empty()) {
        OGRE_EXCEPT(Ogre::Exception::ERR_INVALIDPARAMS, "No file is named", "loadPictureFile");
    }
    if (nameBegin == 0 &&
        Ogre::ResourceGroupManager::getSingleton().resourceExists(defaultGroup, name)) {
        image.load(name, defaultGroup);
        return;
    }
    // Spelt so that the engine never takes it for a folder of resources.cfg, which stays
    // registered.
    const PictureFolder folder(path.substr(0, nameBegin) + "./");
    image.load(name, PictureFolder::group());
}

void storePictureFile(const std::string& path, const unsigned char* pixels, std::uint32_t width,
                      std::uint32_t height, std::uint32_t format) {
    const auto pixelFormat = static_cast<Ogre::PixelFormat>(format);
    // The engine takes the caller's word for all of it, up to an assertion that ends the process.
    if (pixels == nullptr || width == 0 || height == 0 || pixelFormat <= Ogre::PF_UNKNOWN ||
        pixelFormat >= Ogre::PF_COUNT) {
        OGRE_EXCEPT(Ogre::Exception::ERR_INVALIDPARAMS, "There is no picture to store",
                    "storePictureFile");
    }
    Ogre::Image image;
    // Not written to: the interface of the engine does not tell pictures to read from others.
    auto* data = const_cast<unsigned char*>(pixels);
    image.loadDynamicImage(data, width, height, 1, pixelFormat, false, 1, 0);
    image.save(path);
}

}  // namespace keladjust
