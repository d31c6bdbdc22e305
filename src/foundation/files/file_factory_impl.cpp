#include "foundation/files/file_factory_impl.h"

#include "foundation/files/file.h"

namespace brushwork::znOS {

using znString::IString;

namespace {

FileFactoryImpl& factoryOfProcess() {
    static FileFactoryImpl factory;
    return factory;
}

FileFactoryInitializer fileFactoryInitializer;  // registers itself

}  // namespace

FileFactory& FileFactory::instance() {
    return factoryOfProcess();
}

void resetFileFactory() {
    factoryOfProcess().reset();
}

std::unique_ptr<File> FileFactoryImpl::createFile(const IString& name) {
    auto transport = createTransport(name);
    return transport ? std::make_unique<File>(std::move(transport)) : nullptr;
}

std::unique_ptr<FileTransport> FileFactoryImpl::createTransport(const IString& name) {
    for (const auto& factory : added_)
        if (auto transport = factory->create(name)) return transport;
    return local_.create(name);
}

void FileFactoryImpl::addFactory(std::unique_ptr<FileTransportFactory> factory) {
    if (factory) added_.push_back(std::move(factory));
}

void FileFactoryImpl::reset() {
    added_.clear();
}

FileFactoryInitializer::FileFactoryInitializer()
    : Initializer("foundation/files/file_factory_impl.h") {}

void FileFactoryInitializer::initialize(znUtil::Error&) {
    (void)FileFactory::instance();
}

}  // namespace brushwork::znOS
