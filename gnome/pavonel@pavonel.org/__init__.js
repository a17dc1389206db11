// GNOME Shell 43 and 44 load extensions as scripts. Their loader asks this file for `extension` before it looks at
// extension.js, which is for 45 and later: so one folder serves all.
/* exported extension */

const {GLib} = imports.gi;

const ui = {
    Main: imports.ui.main,
    PanelMenu: imports.ui.panelMenu,
    PopupMenu: imports.ui.popupMenu,
};

class PavonelExtension {
    constructor(folder) {
        this._code = `${GLib.filename_to_uri(folder, null)}/companion.js`;
    }

    enable() {
        this._enabled = true;
        import(this._code).then(({Companion}) => {
            if (this._enabled)
                this._companion ??= new Companion(ui);
        }).catch(logError);
    }

    disable() {
        this._enabled = false;
        this._companion?.destroy();
        this._companion = null;
    }
}

var extension = {init: ({path}) => new PavonelExtension(path)};
