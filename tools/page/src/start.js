// What both pages begin with: show the page, or say why not.

export const textOf = (id) => document.getElementById(id).textContent;

/** Makes the page, which stays at hand as `qelmPage` for tests and for whoever is curious. */
export async function runPage(make) {
  try {
    window.qelmPage = await make();
  } catch (error) {
    const failure = document.getElementById('failure');
    failure.textContent = `This page cannot be shown: ${error.message}.`;
    failure.hidden = false;
    throw error;
  }
}
