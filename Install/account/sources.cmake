# The service client: internet session, requests, account record and exchanges,
# and the Favorites import.
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
  ${CMAKE_CURRENT_SOURCE_DIR}/account/FavoritesImport.cpp
)
