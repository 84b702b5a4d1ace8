#ifndef KELADJUST_ENGINE_EFFECTFACTORY_H
#define KELADJUST_ENGINE_EFFECTFACTORY_H

#include <cstdint>
#include <string>

class KelEffectBase;

/// Makes effects by the name of their class, so that the render thread need not know the classes.
namespace DYN_CLASS {

class CAbstractFactory {
public:
    /// A new effect, which is the caller's; null if this factory makes none of that name.
    virtual KelEffectBase* create(const char* className) = 0;
    virtual ~CAbstractFactory() = default;
};

/// Makes objects of class `Effect`, whose `typeName` reads "class " and the name that hosts ask
/// for.
template <class Effect>
class CFactory : public CAbstractFactory {
public:
    KelEffectBase* create(const char* className) override {
        if (std::string("class ") + className != Effect::typeName) return nullptr;
        return new Effect();
    }
};

/// A place in the list of all factories, which it enters and leaves by itself. Factories stand in
/// the list from before main() or the loading of the library to its end.
class CFactoryManager {
public:
    explicit CFactoryManager(CAbstractFactory* factory);
    virtual ~CFactoryManager();
    CFactoryManager(const CFactoryManager&) = delete;
    CFactoryManager& operator=(const CFactoryManager&) = delete;

    /// Asks each factory in turn, the latest first; null if none makes such an effect.
    static KelEffectBase* create(const char* className);

    static CFactoryManager* head;
    static std::uint32_t count;

private:
    CFactoryManager* next_;
    CAbstractFactory* factory_;
};

}  // namespace DYN_CLASS

#endif
