#include "engine/EffectFactory.h"

#include "engine/KelOgreEffectBase.h"

namespace DYN_CLASS {

// Set before any node is made, whatever file that node stands in: both are constants at load time.
constinit CFactoryManager* CFactoryManager::head = nullptr;
constinit std::uint32_t CFactoryManager::count = 0;

CFactoryManager::CFactoryManager(CAbstractFactory* factory) : next_(head), factory_(factory) {
    head = this;
    ++count;
}

CFactoryManager::~CFactoryManager() {
    for (CFactoryManager** link = &head; *link != nullptr; link = &(*link)->next_) {
        if (*link != this) continue;
        *link = next_;
        break;
    }
    if (count == 1) head = nullptr;
    --count;
}

KelEffectBase* CFactoryManager::create(const char* className) {
    for (CFactoryManager* node = head; node != nullptr; node = node->next_) {
        KelEffectBase* effect = node->factory_->create(className);
        if (effect != nullptr) return effect;
    }
    return nullptr;
}

}  // namespace DYN_CLASS

namespace {

DYN_CLASS::CFactory<KelOgreEffectBase> effectFactory;
const DYN_CLASS::CFactoryManager effectFactoryPlace(&effectFactory);

}  // namespace
