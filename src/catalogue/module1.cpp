#include "catalogue/module1.h"

namespace tarnwick {

Module1::Module1(IPrompts &prompts, const AppEnvironment &environment, const QLocale &locale)
    : m_prompts(prompts), m_environment(environment), m_locale(locale)
{
}

Module1::~Module1() = default;

Table &Module1::Catalogue()
{
    if (!m_catalogue)
        m_catalogue = std::make_unique<Table>();
    return *m_catalogue;
}

Products &Module1::AllProducts()
{
    if (!m_products)
        m_products = std::make_unique<Products>(Catalogue(), m_prompts, m_environment, m_locale);
    return *m_products;
}

} // namespace tarnwick
