# The service client: internet session, requests, account record and exchanges,
# the account pages, the form checks and the Favorites import.
target_sources(setupcore PRIVATE
  ${CMAKE_CURRENT_SOURCE_DIR}/account/InternetSession.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/HttpRequest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/RequestWorker.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/ConnectionState.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/InternetErrorText.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/FormEncoding.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/MachineIdentity.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/AccountDetails.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/AccountExchanges.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/CookieDate.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/CookieStore.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/FormChecks.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/DetailLists.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/InputFilter.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/LoginPage.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/DetailsPage.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/FavoritesImport.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/AccountChoicePage.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/AccountPage.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/account/ConfirmPage.cpp
)
# The bar tile that AccountPages.rc names: a change to it rebuilds the resources.
set_property(SOURCE resources/Setup.rc APPEND PROPERTY
  OBJECT_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/resources/accountbar.bmp)
