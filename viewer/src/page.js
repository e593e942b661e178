import { WebGLRenderer } from "three"; window.r = WebGLRenderer;
