// For GNOME Shell 45 and later; 43 and 44 load __init__.js.
import {Extension} from 'resource:///org/gnome/shell/extensions/extension.js';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';
import * as PanelMenu from 'resource:///org/gnome/shell/ui/panelMenu.js';
import * as PopupMenu from 'resource:///org/gnome/shell/ui/popupMenu.js';

import {Companion} from './companion.js';

export default class PavonelExtension extends Extension {
    enable() {
        this._companion = new Companion({Main, PanelMenu, PopupMenu});
    }

    disable() {
        this._companion.destroy();
        this._companion = null;
    }
}
